// recognise: spoken phrases of two words, each recognised from the others.
//
// Leave-one-out over the recordings: every recording is recognised with models that were trained on all the others,
// once for its first and once for its second word. What was said is in the file's name: Front_Center.wav.

#include "front_end.hpp"
#include "plot.hpp"
#include "wav.hpp"
#include "words.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr const char* const defaultFolder = "/usr/share/sounds/alsa";
constexpr const char* const phrases[] = {"Front_Center", "Front_Left", "Front_Right", "Rear_Center",
                                         "Rear_Left",    "Rear_Right", "Side_Left",   "Side_Right"};

constexpr const char* const help = R"(usage: recognise [--plot FILE.png]
       recognise [--plot FILE.png] RECORDING.wav...

Without recordings: recognises both words of the eight spoken phrases that Debian's package alsa-utils installs, each phrase with models
trained on the others, and draws the first of them with its scores. With recordings: prints their cepstra with the mean removed, the zeroth
last, and draws their mel energies and first cepstra.

The picture goes to recognise.png, or where --plot says; with several recordings one picture for each, with -NAME before the ending.
)";

example::Options speechOptions()
{
    example::Options options;
    options.lowHz = 80;
    options.highHz = 7600;
    options.removeMean = true;
    return options;
}

// One line that is written over itself, on a terminal only.
class Progress
{
public:
    void show(const std::string& text)
    {
        if (terminal) {
            std::fprintf(stderr, "\r\033[K%s", text.c_str());
        }
    }
    ~Progress() { show(""); }

private:
    bool terminal = isatty(STDERR_FILENO) != 0;
};

struct Phrase
{
    example::Recording recording;
    example::Features features;
    example::TwoWords place;
    std::string words[2];

    [[nodiscard]] example::Token token(int which) const
    {
        return {&features.vectors, which == 0 ? place.first : place.second};
    }
};

float mean(const std::vector<float>& v)
{
    float sum = 0;
    example::check(lyrsSum_32f(v.data(), static_cast<Elem32s>(v.size()), &sum, 0), "lyrsSum_32f");
    return sum / static_cast<float>(v.size());
}

struct Result
{
    std::string word;
    float margin = 0; // log-likelihood per frame ahead of the second best
    std::vector<example::Curve> curves;
};

// Recognises word `which` of phrase `held` with models of all the other phrases.
Result recogniseWord(const std::vector<Phrase>& all, std::size_t held, int which, example::StageTimes& times)
{
    std::map<std::string, std::vector<example::Token>> examples;
    std::vector<example::Token> everything;
    for (std::size_t p = 0; p < all.size(); ++p) {
        if (p != held) {
            examples[all[p].words[which]].push_back(all[p].token(which));
            everything.push_back(all[p].token(which));
        }
    }

    std::vector<example::WordModel> models;
    times.measure("training", [&] {
        // With one or two examples of a word most of the variance between speakings is not seen: a share of that over
        // all words stands in.
        std::vector<float> floor = example::pooledVariance(everything);
        example::check(lyrsMulC_32f_I(0.5F, floor.data(), static_cast<Elem32s>(floor.size())), "lyrsMulC_32f_I");
        for (const auto& [word, tokens] : examples) {
            models.emplace_back(word, tokens, floor);
        }
    });

    Result result;
    times.measure("scoring", [&] {
        float best = -INFINITY;
        float second = -INFINITY;
        for (const example::WordModel& model : models) {
            const example::Token token = all[held].token(which);
            example::Curve curve{model.word(), token.frames.first, model.scoreFrames(token), false};
            const float score = mean(curve.values);
            if (score > best) {
                second = best;
                best = score;
                result.word = model.word();
            } else {
                second = std::max(second, score);
            }
            result.curves.push_back(std::move(curve));
        }
        result.margin = best - second;
        for (example::Curve& curve : result.curves) {
            curve.emphasised = curve.label == result.word;
        }
    });
    return result;
}

void printTimes(const example::StageTimes& times, double seconds)
{
    std::printf("\n%-18s %10s %8s\n", "stage", "ms", "share");
    for (const auto& entry : times.entries()) {
        std::printf("%-18s %10.2f %7.1f%%\n", entry.stage.c_str(), entry.seconds * 1000,
                    100 * entry.seconds / times.total());
    }
    std::printf("%-18s %10.2f   %.1f s of speech, %.0f times faster than real time\n", "all", times.total() * 1000,
                seconds, seconds / times.total());
}

[[nodiscard]] int draw(const example::Picture& picture, const std::string& path)
{
    const std::string error = example::drawPicture(picture, path);
    if (!error.empty()) {
        std::cerr << "recognise: " << error << '\n';
        return 1;
    }
    std::printf("picture: %s\n", path.c_str());
    return 0;
}

int recognisePhrases(const std::string& plot)
{
    Progress progress;
    example::StageTimes times;
    std::vector<Phrase> all;
    double seconds = 0;
    std::vector<float> centres;
    for (const char* const phrase : phrases) {
        progress.show(std::string("features of ") + phrase);
        std::string error;
        auto recording =
            example::readRecording((std::filesystem::path(defaultFolder) / phrase).string() + ".wav", error);
        if (!recording) {
            progress.show("");
            std::cerr << "recognise: " << error << " (the recordings come with Debian's package alsa-utils)\n";
            return 1;
        }
        Phrase p;
        const example::FrontEnd frontEnd(speechOptions(), recording->rate);
        p.features = frontEnd.compute(recording->samples, times);
        p.place = example::findTwoWords(p.features.energies);
        const std::string name(phrase);
        p.words[0] = name.substr(0, name.find('_'));
        p.words[1] = name.substr(name.find('_') + 1);
        seconds += recording->seconds();
        p.recording = std::move(*recording);
        centres = frontEnd.centres();
        all.push_back(std::move(p));
    }

    std::vector<Result> results;
    for (std::size_t p = 0; p < all.size(); ++p) {
        for (int which = 0; which < 2; ++which) {
            progress.show("recognising " + all[p].recording.name);
            results.push_back(recogniseWord(all, p, which, times));
        }
    }
    progress.show("");

    std::printf("%-14s  %-8s %7s    %-8s %7s\n", "said", "first", "margin", "second", "margin");
    int right = 0;
    for (std::size_t p = 0; p < all.size(); ++p) {
        std::printf("%-14s", all[p].recording.name.c_str());
        for (int which = 0; which < 2; ++which) {
            const Result& r = results[2 * p + static_cast<std::size_t>(which)];
            const bool correct = r.word == all[p].words[which];
            right += correct ? 1 : 0;
            std::printf("  %-8s %7.2f%s", r.word.c_str(), static_cast<double>(r.margin), correct ? "  " : " *");
        }
        std::printf("\n");
    }
    std::printf("%d of %zu words right (%.0f %%); * marks an error; margins are log-likelihoods per frame ahead of the "
                "second best word\n",
                right, results.size(), 100.0 * right / static_cast<double>(results.size()));
    printTimes(times, seconds);

    example::Picture picture;
    picture.title = "\"" + all[0].words[0] + " " + all[0].words[1] + "\", recognised as \"" + results[0].word + " " +
                    results[1].word + "\"";
    picture.logEnergies = &all[0].features.energies;
    picture.centres = centres;
    picture.secondsPerFrame = speechOptions().shiftMs / 1000;
    picture.curvesTitle = "log-likelihood of each frame in nats, first and second word";
    for (int which = 0; which < 2; ++which) {
        for (const example::Curve& curve : results[static_cast<std::size_t>(which)].curves) {
            picture.curves.push_back(curve);
        }
    }
    picture.marks = {all[0].place.first.first, all[0].place.first.last, all[0].place.second.first,
                     all[0].place.second.last};
    return draw(picture, plot);
}

int describeRecordings(const std::vector<std::string>& paths, const std::string& plot)
{
    for (std::size_t i = 0; i < paths.size(); ++i) {
        std::string error;
        const auto recording = example::readRecording(paths[i], error);
        if (!recording) {
            std::cerr << "recognise: " << error << '\n';
            return 1;
        }
        example::Options options = speechOptions();
        options.highHz = std::min(options.highHz, recording->rate / 2);
        example::StageTimes times;
        example::Features features;
        std::vector<float> centres;
        try {
            const example::FrontEnd frontEnd(options, recording->rate);
            features = frontEnd.compute(recording->samples, times);
            centres = frontEnd.centres();
        } catch (const example::Failure& failure) {
            std::cerr << "recognise: " << paths[i] << ": " << failure.what() << '\n';
            return 1;
        }
        const example::Matrix& m = features.vectors;
        std::printf("%s: %.2f s at %.0f Hz, %d frames of %d features\n", paths[i].c_str(), recording->seconds(),
                    static_cast<double>(recording->rate), m.rows(), m.columns());
        for (int r = 0; r < m.rows(); ++r) {
            std::printf("%4d", r);
            for (int c = 0; c < options.cepstra + 1; ++c) {
                std::printf(" %8.3f", static_cast<double>(m.row(r)[c]));
            }
            std::printf("\n");
        }
        printTimes(times, recording->seconds());

        example::Picture picture;
        picture.title = recording->name;
        picture.logEnergies = &features.energies;
        picture.centres = centres;
        picture.secondsPerFrame = options.shiftMs / 1000;
        picture.curvesTitle = "cepstra, mean removed";
        for (const int c : {options.cepstra, 0, 1, 2}) {
            std::string label = "c";
            label += std::to_string(c == options.cepstra ? 0 : c + 1);
            example::Curve curve{std::move(label), 0, {}, c == options.cepstra};
            for (int r = 0; r < m.rows(); ++r) {
                curve.values.push_back(m.row(r)[c]);
            }
            picture.curves.push_back(std::move(curve));
        }
        std::string path = plot;
        if (paths.size() > 1) { // one picture for each recording
            std::filesystem::path numbered(plot);
            path = (numbered.parent_path() / (numbered.stem().string() + "-" + recording->name + ".png")).string();
        }
        if (const int failed = draw(picture, path); failed != 0) {
            return failed;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::string plot = "recognise.png";
    std::vector<std::string> paths;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            std::cout << help;
            return 0;
        }
        if (argument == "--plot") {
            if (++i == argc) {
                std::cerr << "recognise: --plot needs a file; try: recognise --help\n";
                return 2;
            }
            plot = argv[i];
        } else if (argument.size() > 1 && argument[0] == '-') {
            std::cerr << "recognise: unknown option " << argument << "; try: recognise --help\n";
            return 2;
        } else {
            paths.push_back(argument);
        }
    }
    try {
        const int failed = paths.empty() ? recognisePhrases(plot) : describeRecordings(paths, plot);
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            throw example::Failure("standard output: cannot be written");
        }
        return failed;
    } catch (const example::Failure& failure) {
        std::cerr << "recognise: " << failure.what() << '\n';
        return 1;
    }
}
