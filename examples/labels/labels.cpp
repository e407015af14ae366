// Shows the tables of a labelled search.
//
//     labels PARAMETERS
//
// Writes the temporary tables of every label that the parameter file's "quant" names, as an engine
// does for its worker processes (output path + number + ".aa" and ".mod"), and reads them back.
// Prints, separated by tabs: of each label the residues that it changes, with mass and shift; then
// the selected modifications of all labels, with mass. Start it in a folder that holds element.ini
// and quant.ini. Exit status 1: something that is needed is missing; 2: wrong arguments.

#include <cmath>
#include <exception>
#include <iomanip>
#include <iostream>

#include "tessel/tessel.h"

namespace {

void print_label(tessel::CCondition& condition, std::size_t label,
                 const tessel::CAlphaBet& unlabelled) {
    // A table of a label holds every letter, so nothing of the table before it is left.
    condition.m_strAAPath = condition.GetTmpAAPath(label);
    condition.ReadAA();
    for (std::size_t i = 0; i < tessel::kResidueLetters; ++i) {
        const double mass = condition.m_cAlphaBet.m_lfMass[i];
        const double shift = mass - unlabelled.m_lfMass[i];
        if (std::fabs(shift) < 1e-6) continue;
        std::cout << condition.m_vLabels[label] << '\t' << static_cast<char>('A' + i) << '\t'
                  << mass << '\t' << shift << '\n';
    }
}

void run(const char* parameterFile) {
    tessel::CConditionReader reader(parameterFile);
    reader.Read();
    tessel::CCondition& condition = reader.m_cCondition;
    condition.Initialize();
    const tessel::CAlphaBet unlabelled = condition.m_cAlphaBet;

    //! [labels]
    const std::size_t labels = condition.WriteConfFiles();
    std::cout << std::fixed << std::setprecision(6);
    for (std::size_t i = 0; i < labels; ++i)
        print_label(condition, i, unlabelled);

    // "#0" marks the unlabelled form, "#1" that of the first label, and so on.
    condition.ReLoadAllMods();
    for (const tessel::CMod* mod : condition.m_vSelMods)
        std::cout << mod->m_strName << '\t' << mod->m_lfMass << '\n';
    //! [labels]
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: labels PARAMETERS\n";
        return 2;
    }
    try {
        run(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << "labels: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
