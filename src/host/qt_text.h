// Texts of the logic as Qt knows them.
#pragma once

#include <QString>
#include <string>

namespace gainsmith {

// Texts outside Qt are UTF-8. What is none becomes replacement characters.
QString ToQt(const std::string& text);
std::string FromQt(const QString& text);

}  // namespace gainsmith
