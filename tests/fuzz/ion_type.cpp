// Ion-type lines, against fields taken off by plain functions.

#include "tessel/space/ion_type.h"

#include "tests/fuzz/support/plain_text.h"
#include "tests/fuzz/support/target.h"

namespace tessel::fuzz {
namespace {

// Takes a number off; 0 when there is a text that is none, nothing at all at the end.
template <class Read, class Number>
void take(std::string_view& rest, bool& good, Read read, Number& number) {
    good = good && !plain_words(rest).empty();
    if (!good) return;
    const auto plain = read(rest);
    number = plain.length > 0 ? plain.value : Number();
    good = plain.length > 0;
    rest.remove_prefix(plain.length);
}

}  // namespace

void run(CBytes input) {
    const std::string definition(input.Text());
    CIonType ion;
    ion.m_strName = "old";
    ion.m_nCharge = 7;
    ion.m_lfOffset = 1.5;
    ion.m_bNTerm = ion.m_bFlag = true;
    ion.Init(definition);

    const std::vector<std::string> words = plain_words(definition);
    const std::string name = words.empty() ? "old" : words[0];
    std::string_view rest(definition);
    bool good = !words.empty();
    if (good) rest.remove_prefix(rest.find(name) + name.size());
    int charge = 7;
    int nTerm = 0;
    int flag = 0;
    double offset = 1.5;
    take(rest, good, plain_integer<int>, charge);
    take(rest, good, plain_integer<int>, nTerm);
    take(rest, good, plain_integer<int>, flag);
    take(rest, good, plain_double, offset);
    check(ion.m_strDefinition == definition && ion.m_strName == name, "texts are kept");
    check(ion.m_nCharge == charge, "the charge is the second column");
    check(ion.m_bNTerm == (nTerm != 0) && ion.m_bFlag == (flag != 0), "flags are not 0");
    check(same(ion.m_lfOffset, offset), "the offset is the last column");
}

}  // namespace tessel::fuzz
