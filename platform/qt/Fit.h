// Making texts fit the places that the design gives them, whatever fonts a machine has.
#pragma once

#include <QFont>
#include <QSize>
#include <QString>
#include <vector>

#include "platform/Dialog.h"

namespace orvo::qt {

/// The designed font, or the nearest that this machine has: one of the same widths, else the user's own.
QFont ReadableFont(const Font& designed);

/// The font itself, then ever narrower and at last smaller ones, all readable still.
std::vector<QFont> Narrower(const QFont& font);

struct FittedText {
    QString text;  ///< broken into lines; an ampersand still marks the access key
    QFont font;
    bool fits = false;
};

/// Breaks a caption between words so that it fits, in the first of the narrower fonts that does.
FittedText FitCaption(const QString& caption, const QFont& font, QSize room);

/// A caption as it reads, without the mark of its access key.
QString WithoutMark(QString caption);

}  // namespace orvo::qt
