#include "plot.hpp"

#include <algorithm>
#include <array>
#include <cairo.h>
#include <cmath>
#include <cstdio>
#include <limits>

namespace example {

namespace {

struct Colour
{
    double r, g, b;
};

// From dark to bright with even steps of lightness, so that the picture reads in grey as well.
Colour heat(double x)
{
    constexpr std::array<Colour, 5> stops{
        {{0.00, 0.00, 0.08}, {0.23, 0.06, 0.44}, {0.65, 0.17, 0.38}, {0.95, 0.49, 0.20}, {0.99, 0.98, 0.75}}};
    x = std::clamp(x, 0.0, 1.0) * (stops.size() - 1);
    const auto i = std::min(static_cast<std::size_t>(x), stops.size() - 2);
    const double t = x - static_cast<double>(i);
    const auto mix = [t](double a, double b) { return a + t * (b - a); };
    return {mix(stops[i].r, stops[i + 1].r), mix(stops[i].g, stops[i + 1].g), mix(stops[i].b, stops[i + 1].b)};
}

constexpr std::array<Colour, 6> curveColours{{{0.12, 0.47, 0.71},
                                              {0.84, 0.37, 0.05},
                                              {0.17, 0.57, 0.22},
                                              {0.58, 0.40, 0.74},
                                              {0.00, 0.62, 0.65},
                                              {0.40, 0.40, 0.40}}};

class Canvas
{
public:
    Canvas(int width, int height)
        : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)), cr(cairo_create(surface))
    {
        cairo_set_source_rgb(cr, 1, 1, 1);
        cairo_paint(cr);
        cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    }
    ~Canvas()
    {
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // `align`: 0 left, 0.5 centred, 1 right of x.
    void text(double x, double y, const std::string& words, double size, double align, Colour colour = {0.1, 0.1, 0.1})
    {
        cairo_set_font_size(cr, size);
        cairo_text_extents_t extents;
        cairo_text_extents(cr, words.c_str(), &extents);
        cairo_set_source_rgb(cr, colour.r, colour.g, colour.b);
        cairo_move_to(cr, x - align * extents.x_advance, y);
        cairo_show_text(cr, words.c_str());
    }

    void line(double x0, double y0, double x1, double y1, Colour colour, double width)
    {
        cairo_set_source_rgb(cr, colour.r, colour.g, colour.b);
        cairo_set_line_width(cr, width);
        cairo_move_to(cr, x0, y0);
        cairo_line_to(cr, x1, y1);
        cairo_stroke(cr);
    }

    cairo_surface_t* surface;
    cairo_t* cr;
};

struct Panel
{
    double left, top, width, height;
    int frames;
    double secondsPerFrame;

    [[nodiscard]] double x(double frame) const { return left + width * frame / frames; }
    [[nodiscard]] double y(double share) const { return top + height * (1 - share); }
};

// The distance of ticks on an axis: 1, 2 or 5 of a power of ten.
struct Ticks
{
    Ticks(double range, int atMost)
    {
        const double power = std::floor(std::log10(range / atMost));
        const double unit = std::pow(10, power);
        const double wanted = range / atMost / unit;
        step = unit * (wanted <= 1 ? 1 : (wanted <= 2 ? 2 : (wanted <= 5 ? 5 : 10)));
        decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    }

    [[nodiscard]] std::string label(double value) const
    {
        char text[64];
        std::snprintf(text, sizeof text, "%.*f", decimals, value + 0.0); // no minus before a zero
        return text;
    }

    double step;
    int decimals;
};

void drawTimeAxis(Canvas& canvas, const Panel& panel)
{
    const double seconds = panel.frames * panel.secondsPerFrame;
    const Ticks ticks(seconds, 12);
    for (int tick = 0; tick * ticks.step <= seconds + 1e-9; ++tick) {
        const double t = tick * ticks.step;
        const double x = panel.x(t / panel.secondsPerFrame);
        canvas.line(x, panel.y(0), x, panel.y(0) + 4, {0.3, 0.3, 0.3}, 1);
        canvas.text(x, panel.y(0) + 17, ticks.label(t), 11, 0.5);
    }
    canvas.text(panel.left + panel.width, panel.y(0) + 31, "seconds", 11, 1);
}

// What the colours from `low` to `high` mean.
void drawScale(Canvas& canvas, const Panel& panel, double low, double high)
{
    const double left = panel.left + panel.width + 14;
    constexpr double width = 16;
    for (int row = 0; row < static_cast<int>(panel.height); ++row) {
        const Colour colour = heat(1 - (row + 0.5) / panel.height);
        cairo_set_source_rgb(canvas.cr, colour.r, colour.g, colour.b);
        cairo_rectangle(canvas.cr, left, panel.top + row, width, 1);
        cairo_fill(canvas.cr);
    }
    const Ticks ticks(high - low, 6);
    const auto last = std::llround(std::floor(high / ticks.step));
    for (auto tick = std::llround(std::ceil(low / ticks.step)); tick <= last; ++tick) {
        const double value = static_cast<double>(tick) * ticks.step;
        const double y = panel.y((value - low) / (high - low));
        canvas.line(left + width, y, left + width + 4, y, {0.3, 0.3, 0.3}, 1);
        canvas.text(left + width + 8, y + 4, ticks.label(value), 11, 0);
    }
    canvas.text(left, panel.top - 8, "ln", 11, 0);
}

void drawEnergies(Canvas& canvas, const Panel& panel, const Picture& picture)
{
    const Matrix& m = *picture.logEnergies;
    std::vector<float> sorted;
    for (int r = 0; r < m.rows(); ++r) {
        sorted.insert(sorted.end(), m.row(r), m.row(r) + m.columns());
    }
    std::sort(sorted.begin(), sorted.end());
    // The extreme hundredths would leave the rest of the picture flat.
    const double low = sorted[sorted.size() / 50];
    double high = sorted[sorted.size() - 1 - sorted.size() / 200];
    if (!(high > low)) {
        high = low + 1;
    }
    cairo_set_antialias(canvas.cr, CAIRO_ANTIALIAS_NONE);
    for (int f = 0; f < m.rows(); ++f) {
        for (int c = 0; c < m.columns(); ++c) {
            const Colour colour = heat((static_cast<double>(m.row(f)[c]) - low) / (high - low));
            cairo_set_source_rgb(canvas.cr, colour.r, colour.g, colour.b);
            const double top = panel.y((c + 1.0) / m.columns());
            cairo_rectangle(canvas.cr, panel.x(f), top, panel.x(f + 1) - panel.x(f) + 1,
                            panel.y(c * 1.0 / m.columns()) - top + 1);
            cairo_fill(canvas.cr);
        }
    }
    cairo_set_antialias(canvas.cr, CAIRO_ANTIALIAS_DEFAULT);
    const auto every = std::max<std::size_t>(1, picture.centres.size() / 6);
    for (std::size_t c = 0; c < picture.centres.size(); c += every) {
        const double y = panel.y((static_cast<double>(c) + 0.5) / static_cast<double>(picture.centres.size()));
        canvas.text(panel.left - 8, y + 4, std::to_string(std::lround(picture.centres[c])), 11, 1);
    }
    canvas.text(panel.left - 8, panel.top - 8, "Hz", 11, 1);
    drawScale(canvas, panel, low, high);
}

void drawCurves(Canvas& canvas, const Panel& panel, const Picture& picture)
{
    float low = std::numeric_limits<float>::max();
    float high = std::numeric_limits<float>::lowest();
    for (const Curve& curve : picture.curves) {
        for (const float v : curve.values) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    }
    if (!(high > low)) {
        high = low + 1;
    }
    // From one tick to another.
    const Ticks ticks(static_cast<double>(high) - static_cast<double>(low), 6);
    const auto first = std::llround(std::floor(static_cast<double>(low) / ticks.step));
    const auto last = std::llround(std::ceil(static_cast<double>(high) / ticks.step));
    const auto share = [&](double v) {
        return (v / ticks.step - static_cast<double>(first)) / static_cast<double>(last - first);
    };
    for (auto tick = first; tick <= last; ++tick) {
        const double value = static_cast<double>(tick) * ticks.step;
        const double y = panel.y(share(value));
        canvas.line(panel.left, y, panel.left + panel.width, y, {0.88, 0.88, 0.88}, 1);
        canvas.text(panel.left - 8, y + 4, ticks.label(value), 11, 1);
    }
    std::size_t colour = 0;
    double legend = panel.top + 14;
    for (const Curve& curve : picture.curves) {
        const Colour c = curveColours[colour++ % curveColours.size()];
        cairo_set_source_rgb(canvas.cr, c.r, c.g, c.b);
        cairo_set_line_width(canvas.cr, curve.emphasised ? 2.4 : 1.2);
        for (std::size_t i = 0; i < curve.values.size(); ++i) {
            const double x = panel.x(curve.firstFrame + static_cast<double>(i) + 0.5);
            const double y = panel.y(share(curve.values[i]));
            i == 0 ? cairo_move_to(canvas.cr, x, y) : cairo_line_to(canvas.cr, x, y);
        }
        cairo_stroke(canvas.cr);
        canvas.line(panel.left + panel.width + 12, legend - 4, panel.left + panel.width + 32, legend - 4, c,
                    curve.emphasised ? 2.4 : 1.2);
        canvas.text(panel.left + panel.width + 38, legend, curve.label, 12, 0);
        legend += 18;
    }
}

} // namespace

std::string drawPicture(const Picture& picture, const std::string& path)
{
    constexpr int width = 1100;
    constexpr int height = 640;
    Canvas canvas(width, height);
    const int frames = picture.logEnergies->rows();
    const Panel energies{70, 60, 860, 260, frames, picture.secondsPerFrame};
    const Panel curves{70, 390, 860, 200, frames, picture.secondsPerFrame};

    canvas.text(energies.left, 28, picture.title, 16, 0);
    canvas.text(energies.left, energies.top - 8, "mel energies, natural logarithm", 12, 0);
    drawEnergies(canvas, energies, picture);
    drawTimeAxis(canvas, energies);
    canvas.text(curves.left, curves.top - 8, picture.curvesTitle, 12, 0);
    drawCurves(canvas, curves, picture);
    drawTimeAxis(canvas, curves);
    for (const int mark : picture.marks) {
        canvas.line(energies.x(mark), energies.y(1), energies.x(mark), energies.y(0), {1, 1, 1}, 1.5);
        canvas.line(curves.x(mark), curves.y(1), curves.x(mark), curves.y(0), {0.5, 0.5, 0.5}, 1.5);
    }

    const cairo_status_t status = cairo_surface_write_to_png(canvas.surface, path.c_str());
    return status == CAIRO_STATUS_SUCCESS ? std::string() : path + ": " + cairo_status_to_string(status);
}

} // namespace example
