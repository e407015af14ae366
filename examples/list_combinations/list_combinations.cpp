// Lists the modification combinations within a mass window.
//
//     list_combinations PARAMETERS LOWER UPPER
//
// Prints the mass in Da and the names, with a tab between, of every combination of the selected
// modifications, alone and with one and two further ones of the table, from LOWER to UPPER Da; each
// of the three groups by ascending mass. The lookup tables find the first one without a search.
// Start it in a folder that holds element.ini and quant.ini. Exit status 1: something that is
// needed is missing; 2: wrong arguments.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <exception>
#include <iomanip>
#include <iostream>

#include "tessel/tessel.h"

namespace {

using Group = std::vector<tessel::CModCombInfo>;

bool read_mass(const char* text, double& mass) {
    const char* const end = text + std::strlen(text);
    const auto read = std::from_chars(text, end, mass);
    return read.ec == std::errc() && read.ptr == end && std::fabs(mass) < 1e9;
}

//! [lookup]
// Where the combinations of a mass begin. A table begins at the lightest combination, if that is
// lighter than nothing, and ends at the heaviest.
std::size_t first_of_mass(const Group& group, const std::vector<std::uint32_t>& table,
                          double mass) {
    const auto thousandths = [](double dalton) { return static_cast<long long>(dalton * 1000.0); };
    const long long offset = std::min(thousandths(group.front().m_lfMass), 0LL);
    const long long entry = std::max(thousandths(mass) - offset, 0LL);
    const auto place = static_cast<std::size_t>(entry);
    return place < table.size() ? table[place] : group.size();
}
//! [lookup]

void print(const tessel::CModCombInfo& combination) {
    std::cout << combination.m_lfMass << '\t';
    for (std::size_t i = 0; i < combination.m_cModNum; ++i)
        std::cout << (i > 0 ? ";" : "") << combination.m_pMods[i]->m_strName;
    std::cout << '\n';
}

void run(const char* parameterFile, double lower, double upper) {
    tessel::CConditionReader reader(parameterFile);
    reader.Read();
    tessel::CCondition& condition = reader.m_cCondition;
    // The steps of Initialize() that modifications need.
    condition.ParseQuantMethod();
    condition.ReadElementInfo();
    condition.ReadAA();
    condition.ReadMod();
    condition.CreateModList();
    //! [combinations]
    condition.GenerateModComb();
    //! [combinations]

    std::cout << std::fixed << std::setprecision(6);
    for (std::size_t i = 0; i < condition.m_vModComb.size(); ++i) {
        const Group& group = condition.m_vModComb[i];
        if (group.empty()) continue;
        std::size_t next = first_of_mass(group, condition.m_vModCombHash[i], lower);
        for (; next < group.size() && group[next].m_lfMass <= upper; ++next) {
            // A table is exact to a thousandth.
            if (group[next].m_lfMass >= lower) print(group[next]);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    double lower = 0.0;
    double upper = 0.0;
    if (argc != 4 || !read_mass(argv[2], lower) || !read_mass(argv[3], upper)) {
        std::cerr << "usage: list_combinations PARAMETERS LOWER UPPER\n";
        return 2;
    }
    try {
        run(argv[1], lower, upper);
    } catch (const std::exception& error) {
        std::cerr << "list_combinations: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
