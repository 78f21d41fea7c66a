#pragma once

#include <functional>

/// For code of others that reads what strangers made and may crash or never return: does zTrial in a process
/// of its own, a copy of this one. True only when zTrial returned true; false as well when it crashed, when
/// it used a quarter of a second of the processor, when zMayGoOn (may be empty; asked every 10 milliseconds)
/// answered false, and when no process can be made. What zTrial does to memory is lost; where it leaves an
/// open file is shared with this process.
bool SucceedsInTrial(const std::function<bool()>& zTrial, const std::function<bool()>& zMayGoOn);
