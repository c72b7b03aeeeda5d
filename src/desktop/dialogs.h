// Message boxes and the file and colour dialogs. Each returns when the user has answered.
#pragma once

#include <QString>
#include <optional>
#include <string>

#include "platform/world.h"

class QWidget;

namespace gainsmith {

MessageAnswer RunMessageBox(QWidget* parent, const Message& message);

enum class FilePurpose { Open, Save };
// Asks no overwrite question: the tool asks its own.
ChosenFile RunFileDialog(QWidget* parent, FilePurpose purpose, const std::string& filter);

std::optional<Colour> RunColourDialog(QWidget* parent, Colour present);

// Qt's name filters for "description|pattern|..." pairs; a description left alone at the end
// stands for its own pattern in brackets, or for all files.
QStringList NameFilters(const std::string& filter);

}  // namespace gainsmith
