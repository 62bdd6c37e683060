// The dialog's kinds of controls, drawn so that their texts stay whole.
#pragma once

#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QTextEdit>
#include <string>
#include <vector>

namespace orvo::qt {

/// A text that can be selected and copied. It is wrapped, narrowed where that makes it fit, and scrolls where
/// nothing does.
class TextLabel final : public QTextEdit {
  public:
    explicit TextLabel(QWidget* parent);
    void Show(const QString& text, const QFont& font);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    /// Whether the whole text can be read without scrolling and, if so asked, without a broken word.
    bool Fits(const QFont& font, bool wholeWords);
    void Fit();

    QString text_;
    QFont font_;
};

/// A button whose caption is broken into lines. Enter clicks it where it has the focus, and only there. An
/// access key that several buttons share moves the focus from one to the next.
class CaptionButton final : public QPushButton {
  public:
    explicit CaptionButton(QWidget* parent);
    void Show(const QString& caption, const QFont& font);
    bool Fits() const { return fits_; }

  protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void FocusNextOfKey() const;
    void Fit();

    QString caption_;
    QFont font_;
    bool fits_ = true;
};

/// A frame with its caption in its upper edge, so that its inside begins where the design has it.
class Frame final : public QGroupBox {
  public:
    using QGroupBox::QGroupBox;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A list that scrolls. Long entries go over several lines; an entry is its own tool tip as well.
class List final : public QListWidget {
  public:
    explicit List(QWidget* parent);
    /// Takes as much of the room as whole lines fill.
    void Place(QRect room);
    void Show(const std::vector<std::string>& entries);
};

}  // namespace orvo::qt
