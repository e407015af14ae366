// The result map comes in, cleaned and sorted; a result file with the best ranks of every spectrum
// goes out.

#include <utility>

#include "tessel/base/end_process.h"
#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"
#include "tessel/result/score_key.h"

namespace tessel {
namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 20;

template <class Integer>
void add_integer(std::string& text, Integer value) {
    text += '\t';
    append_integer(text, value);
}

void add_fixed(std::string& text, double value) {
    text += '\t';
    append_fixed(text, value, 6);
}

void add_general(std::string& text, double value) {
    text += '\t';
    append_general(text, value);
}

void add_head(std::string& text, const std::string& title, const CPSMRes& spectrum) {
    text += 'S';
    add_fixed(text, spectrum.m_lfMH);
    add_integer(text, spectrum.m_nCharge);
    text += '\n' + spectrum.m_strTitle + '\n';
}

// The count and the sites, between which the file has the two flag bytes' neighbours.
void add_sites(std::string& text, const CPepRes& pep) {
    const unsigned count = pep.m_pMods == nullptr ? 0 : pep.m_ucModNum;
    add_integer(text, count);
    for (unsigned i = 0; i < count; ++i) {
        const MOD_SITE& site = pep.m_pMods[i];
        add_integer(text, unsigned{site.m_ucPos});
        text += '\t';
        text += site.m_pMod == nullptr ? "NULL" : site.m_pMod->m_strName;
    }
}
