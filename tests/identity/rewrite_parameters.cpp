// rewrite_parameters FROM TO: reads a parameter file and writes its settings as another one.

#include "tessel/tessel.h"

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    tessel::CConditionReader reader(argv[1]);
    reader.Read();
    tessel::CConditionWriter(argv[2], &reader.m_cCondition).Write();
    return 0;
}
