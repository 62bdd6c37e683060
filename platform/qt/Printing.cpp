#include "platform/qt/Printing.h"

#include <QAbstractTextDocumentLayout>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTextDocument>
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

/// Tabs become blanks up to the next multiple of eight.
QString WithoutTabs(const QString& line) {
    QString flat;
    for (const QChar c : line) flat += c == '\t' ? QString(kTab - flat.size() % kTab, ' ') : QString(c);
    return flat;
}

}  // namespace

void PrintLines(QPrinter& printer, const std::vector<std::string>& lines) {
    QTextDocument document;
    document.documentLayout()->setPaintDevice(&printer);
    document.setDocumentMargin(0);
    document.setPageSize(printer.pageRect(QPrinter::DevicePixel).size());
    document.setDefaultFont(PaperFont(printer));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAnywhere);
    document.setDefaultTextOption(option);
    QStringList text;
    for (const std::string& line : lines) text.push_back(WithoutTabs(FromUtf8(line)));
    document.setPlainText(text.join('\n'));
    document.print(&printer);
    if (printer.printerState() == QPrinter::Error) Fail("the printer does not take the document");
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
