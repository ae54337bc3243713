#include "PaletteCommand.h"

#include "BlockPalette.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <map>
#include <memory>

namespace {

struct Wish
{
    std::string file;
    int value = 73;
};

// Heights of flat blocks, in units, and the values that stand for them.
const std::map<std::string, int> flatValues{{"0.5", 73}, {"1", 86}, {"1.5", 95}, {"2", 100}};

int write(const Wish& wish)
{
    if (wish.file == "-") {
        writePalette(blockPalette(wish.value), std::cout);
        return 0;
    }
    std::ofstream out(wish.file);
    writePalette(blockPalette(wish.value), out);
    out.close();
    if (out)
        return 0;
    std::cout << wish.file << ": I cannot write this palette" << std::endl;
    return 1;
}

}  // namespace

void addPaletteCommand(CLI::App& program, int& result)
{
    CLI::App* command = program.add_subcommand(
        "palette",
        "Writes the colours of all blocks with their names, as a palette for GIMP, Krita, Inkscape "
        "and others.");
    const auto wish = std::make_shared<Wish>();
    command->add_option("output", wish->file, "The file to write, such as rollix.gpl; - shows it")
        ->required();
    command
        ->add_option("--height", wish->value,
                     "How high flags, buttons and the like are: 0.5, 1, 1.5 or 2")
        ->transform(CLI::Transformer(flatValues))
        ->check(CLI::IsMember({73, 86, 95, 100}))
        ->default_str("0.5");
    command->callback([wish, &result] { result = write(*wish); });
}
