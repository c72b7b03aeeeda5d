// JSON as the verbs print it.
#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <string>

#include "platform/number_text.h"

namespace gainsmith {

template <typename T>
std::string JsonText(const T& value) {
  return QJsonDocument(value).toJson(QJsonDocument::Indented).trimmed().toStdString();
}

// One line, for streams of objects.
inline std::string JsonLine(const QJsonObject& object) {
  return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

// The number that its text shows: 0.1 and not 0.10000000149.
inline double JsonNumber(float value) { return LeadingNumber(PlainText(value)); }

}  // namespace gainsmith
