// Writes a deterministic sample drawing, such as examples/sample.stk, as an Stk file.

#include <iostream>
#include <string>

#include <CLI/CLI.hpp>
#include <LibStrokeset/LibStrokeset.h>

#include "SampleDrawing.h"

int main(int argc, char** argv) {
    LibStrokeset::Sample::SOptions options;
    std::string output;
    CLI::App app("Write a deterministic sample drawing on which every optimizer phase has work.",
                 "strokeset_make_sample");
    app.add_option("OUT", output, "Stk file to write")->required();
    app.add_option("--collections", options.collections, "Roughly how many collections")
        ->check(CLI::Range(1, 10000000))
        ->capture_default_str();
    app.add_option("--seed", options.seed, "Seed of the pseudo-random choices")
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    std::vector<unsigned short> words = LibStrokeset::Sample::makeDrawing(options);
    std::string error;
    if (!LibStrokeset::CStrokeset::writeStkFile(output, words, error)) {
        std::cerr << "strokeset_make_sample: " << output << ": " << error << '\n';
        return 1;
    }
    return 0;
}
