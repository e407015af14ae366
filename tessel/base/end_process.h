#pragma once

namespace tessel {

/// The one way in which the library ends the process, after its message has been written.
/// It has a source file of its own, so that a program that links the objects statically (a fuzz
/// target, a tool) can supply one that throws; callers therefore hold nothing that an exception
/// would leak.
[[noreturn]] void end_process(int status);

}  // namespace tessel
