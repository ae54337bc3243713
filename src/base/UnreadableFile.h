#pragma once

#include <string>

/// Says on standard output "I cannot read the <what> <path>. <consequence>", once per path and run:
/// what is missing is asked for again at every rebuild. Any thread.
void reportUnreadable(const std::string& what, const std::string& path,
                      const std::string& consequence);
