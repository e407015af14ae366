#pragma once

#include <functional>

namespace tessel::test {

/// Runs a part of the present test in a console, which test programs need not have: the program is
/// started anew for this test, attached to a console without a window. A failure there is one here.
void in_console(const std::function<void()>& part);

}  // namespace tessel::test
