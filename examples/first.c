#include <lyrsr.h>
#include <stdio.h>

int main(void)
{
    /* Three frames of two features, and a Gaussian: mean, inverse variance, constant. */
    const Elem32f frames[] = {1.0F, 2.0F, 1.5F, 2.5F, 9.0F, 9.0F};
    const Elem32f mean[] = {1.0F, 2.0F};
    const Elem32f inverseVariance[] = {4.0F, 1.0F};
    const Elem32f constant = -1.1447F; /* -1/2 * ln((2 pi)^2 * 1/4) */
    Elem32f scores[3];

    const Status status = lyrsLogGauss_32f_D2(frames, 2, mean, inverseVariance, 2, scores, 3, constant);
    if (status != StsNoErr) {
        fprintf(stderr, "lyrsLogGauss_32f_D2: status %d\n", (int)status);
        return 1;
    }
    for (int i = 0; i < 3; ++i) {
        printf("frame %d: log-likelihood %.4f\n", i, scores[i]);
    }
    return 0;
}
