#include "platform/qt/Controls.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionGroupBox>
#include <QTextDocument>
#include <algorithm>

#include "platform/qt/Fit.h"
#include "platform/qt/Texts.h"

namespace orvo::qt {

TextLabel::TextLabel(QWidget* parent) : QTextEdit(parent) {
    setReadOnly(true);
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document()->setDocumentMargin(0);
}

void TextLabel::Show(const QString& text, const QFont& font) {
    if (text == text_ && font == font_) return;  // what the user has selected stays selected
    text_ = text;
    font_ = font;
    setPlainText(text);
    setToolTip(text);
    Fit();
}

void TextLabel::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    Fit();
}

void TextLabel::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() != QEvent::PaletteChange && event->type() != QEvent::StyleChange) return;
    QPalette colours = parentWidget()->palette();
    colours.setColor(QPalette::Text, colours.color(QPalette::WindowText));
    if (colours != palette()) setPalette(colours);
}

bool TextLabel::Fits(const QFont& font, bool wholeWords) {
    document()->setDefaultFont(font);
    document()->setTextWidth(width());
    if (document()->size().height() > height()) return false;
    if (!wholeWords) return true;
    const QFontMetrics metrics(font);
    return std::ranges::all_of(
        text_.split(QRegularExpression("\\s"), Qt::SkipEmptyParts),
        [&](const QString& word) { return metrics.horizontalAdvance(word) <= width(); });
}

void TextLabel::Fit() {
    const std::vector<QFont> fonts = Narrower(font_);
    for (const bool wholeWords : {true, false}) {
        for (const QFont& font : fonts) {
            if (!Fits(font, wholeWords)) continue;
            setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
            return;
        }
    }
    document()->setDefaultFont(font_);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

CaptionButton::CaptionButton(QWidget* parent) : QPushButton(parent) {
    setAutoDefault(false);
}

void CaptionButton::Show(const QString& caption, const QFont& font) {
    if (caption == caption_ && font == font_) return;
    caption_ = caption;
    font_ = font;
    Fit();
}

bool CaptionButton::event(QEvent* event) {
    const auto* key = dynamic_cast<const QShortcutEvent*>(event);
    if (key != nullptr && key->isAmbiguous()) {
        FocusNextOfKey();
        return true;
    }
    return QPushButton::event(event);
}

void CaptionButton::FocusNextOfKey() const {
    QList<CaptionButton*> sharing;
    for (auto* button : window()->findChildren<QPushButton*>()) {
        auto* candidate = dynamic_cast<CaptionButton*>(button);
        if (candidate != nullptr && candidate->isVisible() && candidate->shortcut() == shortcut())
            sharing.push_back(candidate);
    }
    const auto at = std::ranges::find(sharing, window()->focusWidget());
    const bool last = at == sharing.end() || std::next(at) == sharing.end();
    (last ? sharing.front() : *std::next(at))->setFocus(Qt::ShortcutFocusReason);
    window()->setAttribute(Qt::WA_KeyboardFocusChange);  // the focus shows
}

void CaptionButton::resizeEvent(QResizeEvent* event) {
    QPushButton::resizeEvent(event);
    Fit();
}

void CaptionButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        animateClick();
    } else {
        QPushButton::keyPressEvent(event);
    }
}

void CaptionButton::Fit() {
    static constexpr QMargins kBorder(4, 2, 4, 2);
    const FittedText fitted = FitCaption(caption_, font_, size().shrunkBy(kBorder));
    fits_ = fitted.fits;
    setFont(fitted.font);
    if (fitted.text != text()) setText(fitted.text);
    if (!fits_) setToolTip(WithoutMark(caption_));
}

void Frame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int indent = fontMetrics().averageCharWidth();
    const QSize caption = fontMetrics().size(Qt::TextShowMnemonic, title());
    const QRect captionBox(QPoint(indent * 3 / 2, 0), caption);
    QRect border = rect().adjusted(0, caption.height() / 2, -1, -1);
    painter.save();
    painter.setClipRegion(QRegion(rect()) - captionBox.adjusted(-indent / 2, 0, indent / 2, 0));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRoundedRect(QRectF(border).translated(.5, .5), 3, 3);
    painter.restore();
    style()->drawItemText(&painter, captionBox, Qt::AlignLeft | Qt::TextShowMnemonic, palette(), isEnabled(),
                          title(), QPalette::WindowText);
}

List::List(QWidget* parent) : QListWidget(parent) {
    setTextElideMode(Qt::ElideNone);
    setWordWrap(true);
    setResizeMode(QListView::Adjust);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void List::Place(QRect room) {
    const int edges = 2 * frameWidth();
    const int line = fontMetrics().lineSpacing();
    room.setHeight(std::max(1, (room.height() - edges) / line) * line + edges);
    setGeometry(room);
}

void List::Show(const std::vector<std::string>& entries) {
    const auto same = [this](std::size_t n, const std::string& entry) {
        return item(static_cast<int>(n))->text() == FromUtf8(entry);
    };
    bool unchanged = static_cast<std::size_t>(count()) == entries.size();
    for (std::size_t n = 0; unchanged && n < entries.size(); ++n) unchanged = same(n, entries[n]);
    if (unchanged) return;
    clear();
    for (const std::string& entry : entries) {
        auto* added = new QListWidgetItem(FromUtf8(entry), this);
        added->setToolTip(FromUtf8(entry));
    }
}

}  // namespace orvo::qt
