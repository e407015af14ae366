// Learn files: what they add to a selection.

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/chemistry.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

// Pairs of index and value on the lines from `first` on.
std::array<double, 4> plain_coefficients(const std::vector<std::string>& lines, std::size_t first) {
    std::string text;
    for (std::size_t i = first; i < lines.size(); ++i)
        text += lines[i] + '\n';
    std::array<double, 4> coefficients{1.0, 1.0, 1.0, 1.0};
    std::string_view rest(text);
    int index = 0;
    double value = 1.0;
    for (std::size_t pair = 0; pair < coefficients.size(); ++pair) {
        const auto nextIndex = plain_integer<int>(rest);
        const auto nextValue = plain_double(rest.substr(nextIndex.length));
        if (nextIndex.length > 0 && nextValue.length > 0) {
            index = nextIndex.value;
            value = nextValue.value;
            rest.remove_prefix(nextIndex.length + nextValue.length);
        } else {
            rest = "";  // after a failure nothing more is read
        }
        if (index >= 0 && index < 4) coefficients[static_cast<std::size_t>(index)] = value;
    }
    return coefficients;
}

}  // namespace

void run(CBytes input) {
    write_chemistry();
    const std::size_t maxMods = input.Choice(16);
    CCondition condition;
    use_chemistry(condition);
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
    condition.m_strSelectMod = input.Flag() ? "Ala->Ser[A]" : "";
    condition.CreateModList();
    write_scratch("run.learn", input.Text());
    check(condition.SetSelMod(maxMods), "the file is there");
    check_mod_tables(condition);

    const std::vector<std::string> lines = plain_lines(input.Text());
    if (lines.size() < 3 || lines[1] != "[----mod prob end----]" ||
        lines[2] != "[----cleave prob----]") {
        return;
    }
    const std::array<double, 4> expected = plain_coefficients(lines, 3);
    for (std::size_t i = 0; i < expected.size(); ++i)
        check(same(condition.m_lfCleaveProb[i], expected[i]), "coefficients stand behind the mark");
}

}  // namespace tessel::fuzz
