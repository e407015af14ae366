// The element table and the amino-acid table: "element.ini" and the file that m_strAAPath names
// come in, the masses of the elements and of the residues are filled.

#include <vector>

#include "tessel/base/line_reader.h"
#include "tessel/base/mass_order.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"
#include "tessel/chem/residues.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

// Takes the text up to the next delimiter off the front; all of it when there is none.
std::string_view take_field(std::string_view& text, char delimiter) {
    const std::size_t end = text.find(delimiter);
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return field;
}

// Hands out what follows the first "=" of every line that begins with the kind.
template <class Take>
void read_records(const std::string& path, char kind, Take take) {
    CLineReader reader(path);
    std::string_view line;
    while (reader.ReadLine(line)) {
        const std::size_t sign = line.find('=');
        if (line.starts_with(kind) && sign != std::string_view::npos) take(line.substr(sign + 1));
    }
}

// The first of equal abundances counts, and the first isotope when none is above 0.
std::size_t most_abundant(const std::vector<std::string>& abundances) {
    std::size_t best = 0;
    double maximum = 0.0;
    for (std::size_t i = 0; i < abundances.size(); ++i) {
        const double abundance = to_double(abundances[i]);
        if (abundance > maximum) {
            maximum = abundance;
            best = i;
        }
    }
    return best;
}

}  // namespace

bool ExtendedAA::EAA_Mass_Less(const ExtendedAA& a, const ExtendedAA& b) {
    return mass_less(a.m_lfMass, b.m_lfMass);
}

void read_residues(const std::string& path,
                   const std::function<void(char letter, std::string_view composition)>& take) {
    read_records(path, 'R', [&take](std::string_view record) {
        const std::string_view name = take_field(record, '|');
        if (!name.empty() && is_upper(name.front())) take(name.front(), take_field(record, '|'));
    });
}

void define_residue(CAlphaBet& alphabet, char letter, const WEIGHED& weighed) {
    const auto index = static_cast<std::size_t>(letter - 'A');
    alphabet.m_lfMass[index] = weighed.m_lfMass;
    alphabet.m_strComposition[index] = weighed.m_strComposition;
}

void CCondition::ReadElementInfo() {
    m_mapElementMass.clear();
    read_records(working_folder() + "\\element.ini", 'E', [this](std::string_view record) {
        const std::string symbol(take_field(record, '|'));
        std::vector<std::string> masses;
        StringSplit(std::string(take_field(record, '|')), ',', masses);
        std::vector<std::string> abundances;
        StringSplit(std::string(take_field(record, '|')), ',', abundances);
        const std::size_t isotope = most_abundant(abundances);
        if (isotope < masses.size()) m_mapElementMass[symbol] = to_double(masses[isotope]);
    });
}

void CCondition::ReadAA() {
    read_residues(m_strAAPath, [this](char letter, std::string_view composition) {
        define_residue(m_cAlphaBet, letter, weigh(composition, m_mapElementMass));
    });
}

}  // namespace tessel
