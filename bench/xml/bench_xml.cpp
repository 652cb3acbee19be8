// Loading a 5 MB timeline, compared with two widely used XML libraries. Their dialects and trees differ from
// ours; each run below parses the same text, walks nothing and frees the tree. The ratio to look at is
// Zentrak / TinyXml2, in one run of this program with
// --benchmark_enable_random_interleaving=true --benchmark_repetitions=8

#include "xml_parser.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <tinyxml2.h>

namespace {

// A script as an author writes it: spans with triggers, splines with keys, nested spans, comments.
std::string makeScript(size_t size) {
    std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n\n<script>\n";
    char line[256];
    for (int span = 0; text.size() < size; ++span) {
        snprintf(
            line, sizeof(line),
            "\t<!-- part %d -->\n\t<effect name=\"effect%d\" from=\"%d.5\" to=\"%d.25\" enabled=\"true\">\n",
            span, span % 17, span, span + 2);
        text += line;
        for (int trigger = 0; trigger < 2; ++trigger) {
            snprintf(line, sizeof(line), "\t\t<trigger name=\"flash%d\" time=\"%d.125\" interval=\"0.5\"/>\n",
                     trigger, span + trigger);
            text += line;
        }
        for (int spline = 0; spline < 5; ++spline) {
            snprintf(line, sizeof(line), "\t\t<spline name=\"parameter%d\" type=\"smooth\">\n", spline);
            text += line;
            for (int key = 0; key < 10; ++key) {
                snprintf(line, sizeof(line), "\t\t\t<key time=\"%d.%03d\" value=\"%.9g\"/>\n", key, key * 37,
                         (key * 7919 + spline * 104729 + span) % 1000003 / 997.0);
                text += line;
            }
            text += "\t\t</spline>\n";
        }
        text += "\t</effect>\n";
    }
    return text + "</script>\n";
}

const std::string& script() {
    static const std::string text = makeScript(5000000);
    return text;
}

void count(benchmark::State& state) {
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(script().size()));
}

void Zentrak(benchmark::State& state) {
    for (auto _ : state) {
        zentrak::xml::XmlParser parser;
        parser.parse(script());
        benchmark::DoNotOptimize(parser.children.data());
    }
    count(state);
}

void TinyXml2(benchmark::State& state) {
    for (auto _ : state) {
        tinyxml2::XMLDocument document;
        if (document.Parse(script().data(), script().size()) != tinyxml2::XML_SUCCESS)
            throw std::runtime_error("not loaded");
        benchmark::DoNotOptimize(document.RootElement());
    }
    count(state);
}

void PugiXml(benchmark::State& state) {
    for (auto _ : state) {
        pugi::xml_document document;
        if (!document.load_buffer(script().data(), script().size(),
                                  pugi::parse_default | pugi::parse_comments))
            throw std::runtime_error("not loaded");
        benchmark::DoNotOptimize(document.document_element());
    }
    count(state);
}

// Without freeing the tree.
void ZentrakParseAlone(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto* parser = new zentrak::xml::XmlParser;
        state.ResumeTiming();
        parser->parse(script());
        state.PauseTiming();
        delete parser;
        state.ResumeTiming();
    }
    count(state);
}

void TinyXml2ParseAlone(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto* document = new tinyxml2::XMLDocument;
        state.ResumeTiming();
        document->Parse(script().data(), script().size());
        state.PauseTiming();
        delete document;
        state.ResumeTiming();
    }
    count(state);
}

void ZentrakWrite(benchmark::State& state) {
    zentrak::xml::XmlParser parser;
    parser.parse(script());
    std::string out;
    for (auto _ : state) {
        parser.write(out, "\t");
        benchmark::DoNotOptimize(out.data());
    }
    count(state);
}

// Documents with many attributes before the root element: time must be linear in their number.
std::string attributes(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += " a" + std::to_string(i) + "=1";
    return text;
}

void parseRepeatedly(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        zentrak::xml::XmlParser parser;
        parser.parse(text);
        benchmark::DoNotOptimize(parser.header.arguments.data());
    }
    state.SetComplexityN(state.range(0));
}

void TwoPrologs(benchmark::State& state) {
    const std::string prolog = "<?xml" + attributes(int(state.range(0))) + "?>";
    parseRepeatedly(state, prolog + prolog + "<r></r>");
}

void ManyPrologs(benchmark::State& state) {
    std::string text;
    for (int i = 0; i < state.range(0); ++i)
        text += "<?xml" + std::string(" a") + std::to_string(i) + "=1?>";
    parseRepeatedly(state, text + "<r></r>");
}

BENCHMARK(Zentrak)->Unit(benchmark::kMillisecond);
BENCHMARK(TinyXml2)->Unit(benchmark::kMillisecond);
BENCHMARK(PugiXml)->Unit(benchmark::kMillisecond);
BENCHMARK(ZentrakParseAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(TinyXml2ParseAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(ZentrakWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(TwoPrologs)->Arg(10000)->Arg(20000)->Arg(40000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(ManyPrologs)->Arg(25000)->Arg(50000)->Arg(100000)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace

BENCHMARK_MAIN();
