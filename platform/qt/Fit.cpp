#include "platform/qt/Fit.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QStringList>
#include <algorithm>

namespace orvo::qt {
namespace {

int WidthOf(const QString& line, const QFontMetrics& metrics) {
    return metrics.size(Qt::TextShowMnemonic, line).width();
}

QStringList Lines(const QString& caption, const QFontMetrics& metrics, int width) {
    QStringList lines;
    for (const QString& word : caption.split(' ', Qt::SkipEmptyParts)) {
        const QString longer = lines.isEmpty() ? word : lines.back() + ' ' + word;
        if (lines.isEmpty() || WidthOf(longer, metrics) > width) {
            lines.push_back(word);
        } else {
            lines.back() = longer;
        }
    }
    return lines;
}

}  // namespace

QFont ReadableFont(const Font& designed) {
    QFont font = QApplication::font();
    const QString family = QString::fromStdString(designed.family);
    for (const QString& candidate :
         {family, QString("Microsoft Sans Serif"), QString("Arial"), QString("Liberation Sans")}) {
        if (!QFontDatabase::hasFamily(candidate)) continue;
        font.setFamilies({candidate});
        break;
    }
    font.setPointSizeF(designed.points);
    font.setBold(designed.bold);
    return font;
}

std::vector<QFont> Narrower(const QFont& font) {
    struct Step {
        int stretch;  // percent
        double size;
    };
    static constexpr Step kSteps[] = {{100, 1}, {95, 1},   {90, 1},   {85, 1},  {80, 1},
                                      {75, 1},  {75, .95}, {70, .95}, {70, .9}, {70, .85}};
    std::vector<QFont> fonts;
    for (const Step& step : kSteps) {
        QFont next = font;
        next.setStretch(step.stretch);
        next.setPointSizeF(font.pointSizeF() * step.size);
        fonts.push_back(next);
    }
    return fonts;
}

FittedText FitCaption(const QString& caption, const QFont& font, QSize room) {
    FittedText fitted{caption, font, false};
    for (const QFont& candidate : Narrower(font)) {
        const QFontMetrics metrics(candidate);
        const QStringList lines = Lines(caption, metrics, room.width());
        fitted.text = lines.join('\n');
        fitted.font = candidate;
        const QSize size = metrics.size(Qt::TextShowMnemonic, fitted.text);
        fitted.fits = size.width() <= room.width() && size.height() <= room.height();
        if (fitted.fits) break;
    }
    return fitted;
}

QString WithoutMark(QString caption) {
    for (qsizetype at = caption.indexOf('&'); at >= 0; at = caption.indexOf('&', at + 1))
        caption.remove(at, 1);
    return caption;
}

}  // namespace orvo::qt
