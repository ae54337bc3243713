#pragma once

#include <string>

/// Says on standard output "I cannot read the <what> <path>. <consequence>", once per path until it
/// has been read: what is missing is asked for again at every rebuild. Any thread.
void reportUnreadable(const std::string& what, const std::string& path,
                      const std::string& consequence);

/// The file has been read: should it break (again), that is news. Any thread.
void noteReadable(const std::string& path);
