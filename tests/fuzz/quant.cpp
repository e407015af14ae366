// "quant.ini" and the quantitation method, through the tables of every label and back.

#include "tessel/condition/condition.h"
#include "tests/fuzz/support/chemistry.h"
#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

void check_replacements(const CCondition& condition) {
    for (const auto& [letter, replacements] : condition.m_mapAALabel) {
        for (const auto& [element, replacement] : replacements) {
            check(element.find_first_of(",}") == std::string::npos &&
                      replacement.find('}') == std::string::npos,
                  "pairs end at the comma and at the brace");
        }
    }
}

}  // namespace

// The method is the first line, the table what follows.
void run(CBytes input) {
    write_chemistry();
    CCondition condition;
    use_chemistry(condition);
    constexpr std::size_t kMaxLabels = 6;
    condition.m_strQuant = input.Until('\n');
    write_scratch("quant.ini", input.Text());
    condition.ParseQuantMethod();
    std::vector<std::string> labels = plain_fields(condition.m_strQuant, '|');
    if (labels.size() > 1) labels.erase(labels.begin());
    if (labels.back().empty()) labels.pop_back();
    check(condition.m_vLabels == labels, "labels stand between bars");
    if (labels.size() > kMaxLabels) return;  // two files each

    if (ends_process([&] { condition.WriteConfFiles(); })) return;
    check_replacements(condition);
    std::string files;
    for (std::size_t i = 1; i <= kMaxLabels; ++i) {
        const std::string number = std::to_string(i);
        if (i > labels.size()) {  // as an earlier input may have left it
            write_scratch(number + ".aa", "");
            write_scratch(number + ".mod", "");
        }
        files += number + ".aa " + number + ".mod ";
    }
    check_scratch_files(files + "aa.ini element.ini modification.ini quant.ini");
    check(!ends_process([&] { condition.ReLoadAllMods(); }), "the tables are there");
    check_mod_tables(condition);
    std::set<std::string> names;
    for (const CMod& mod : condition.m_vMods)
        check(names.insert(mod.m_strName).second, "names are unique over all labels");
}

}  // namespace tessel::fuzz
