#include "platform/qt/Printing.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <algorithm>

#include "platform/RuntimeError.h"
#include "platform/qt/Texts.h"

namespace orvo::qt {
namespace {

constexpr int kTab = 8;
constexpr int kColumns = 93;  // 73 and the indent of a continued line
constexpr double kPoints = 10;
constexpr double kLeastPoints = 6;

[[noreturn]] void Fail(const std::string& why) {
    throw RuntimeError(Fault::PrinterError, why);
}

/// Ten points, or as much less as the widest lines need.
QFont PaperFont(QPrinter& printer) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(kPoints);
    const double width = QFontMetricsF(font, &printer).horizontalAdvance(QString(kColumns, 'M'));
    const double room = printer.pageRect(QPrinter::DevicePixel).width();
    if (width > room) font.setPointSizeF(std::max(kLeastPoints, kPoints * room / width * .99));
    return font;
}

}  // namespace

QStringList PaperLines(const QString& line, int columns) {
    QString flat;
    for (const QChar c : line) {
        if (c == '\t') {
            flat += QString(kTab - flat.size() % kTab, ' ');
        } else {
            flat += c;
        }
    }
    QStringList lines;
    do {
        lines.push_back(flat.left(columns));
        flat.remove(0, columns);
    } while (!flat.isEmpty());
    return lines;
}

void PrintLines(QPrinter& printer, const std::vector<std::string>& lines) {
    const QFont font = PaperFont(printer);
    const QFontMetricsF metrics(font, &printer);
    const QRectF page = printer.pageRect(QPrinter::DevicePixel);
    const int columns = std::max(1, static_cast<int>(page.width() / metrics.horizontalAdvance('M')));
    QPainter painter;
    if (!painter.begin(&printer)) Fail("the printer does not take the document");
    painter.setFont(font);
    double y = 0;
    for (const std::string& line : lines) {
        for (const QString& part : PaperLines(FromUtf8(line), columns)) {
            if (y + metrics.lineSpacing() > page.height()) {
                if (!printer.newPage()) Fail("the printer does not take a further page");
                y = 0;
            }
            painter.drawText(QPointF(0, y + metrics.ascent()), part);
            y += metrics.lineSpacing();
        }
    }
    if (!painter.end() || printer.printerState() == QPrinter::Error) Fail("the document was not printed");
}

void PrintOnDefault(const std::vector<std::string>& lines, const std::string& documentName) {
    const QPrinterInfo info = QPrinterInfo::defaultPrinter();
    if (info.isNull()) Fail("there is no default printer; choose one in the system's settings");
    QPrinter printer(info, QPrinter::HighResolution);
    if (!printer.isValid()) Fail("the printer \"" + info.printerName().toStdString() + "\" is not ready");
    printer.setDocName(QString::fromStdString(documentName));
    PrintLines(printer, lines);
}

}  // namespace orvo::qt
