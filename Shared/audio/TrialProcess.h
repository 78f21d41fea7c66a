#pragma once

#include <functional>

/// Does zTrial in a process of its own, a copy of this one, and returns what it returned: for code of others
/// that reads what strangers made and may crash, or never return. False as well when it used a quarter
/// of a second of the processor, when zMayGoOn, asked every now and then meanwhile, says so, and when no
/// process can be made. What zTrial does to memory is lost; where it leaves an open file is shared with this
/// process.
bool SucceedsInTrial(const std::function<bool()>& zTrial, const std::function<bool()>& zMayGoOn);
