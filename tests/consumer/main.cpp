// A user of the installed library: its settings, a message, and nothing that must not be there.

#include <tessel/tessel.h>

int main() {
    tessel::CCondition condition;
    condition.Message(condition.m_cEnzyme.InfoString(), tessel::LOG_INFO);
    return condition.m_cEnzyme.IsValidCleavage("MKPAR", 2) ? 0 : 1;
}
