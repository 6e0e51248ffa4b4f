// The line at the foot of the main window that names one of the maker's products as a link, with a
// blurb behind it, of which a window that is too narrow shows the beginning and a tooltip the
// whole. Dragging it moves the window. When hidden it keeps its text.
#pragma once

#include <QTextBrowser>
#include <QTextCharFormat>
#include <QTextDocumentFragment>

#include <cstdint>
#include <map>
#include <optional>

class AdvertTextView : public QTextBrowser
{
    Q_OBJECT

public:
    explicit AdvertTextView(QWidget* parent = nullptr);

    // Of the parts that are no link: black unless set. Takes effect with the next product.
    [[nodiscard]] const QTextCharFormat& textAttributes() const { return _attributes; }
    void setTextAttributes(const QTextCharFormat& attributes);

    // Shows the product of the catalogue. One without a blurb still has its name and the dash.
    void setProductId(std::int32_t productId);
    [[nodiscard]] std::int32_t productId() const { return _productId; }

    // Without "Brought to you by "; takes effect with the next product.
    void setShortVersion(bool flag);

    void setProductName(const std::optional<QString>& name, const std::optional<QString>& directory,
        const std::optional<QString>& blurp);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void _build(const QString& behindTheLink);
    void _fit();

    // Nothing for a directory that cannot stand in an address.
    [[nodiscard]] std::optional<QTextDocumentFragment> _linkStringForProductName(
        const std::optional<QString>& productName, const std::optional<QString>& directory) const;
    static std::map<std::int32_t, QString> _blurps();
    static std::optional<QString> _blurpForProductId(std::int32_t productId);

    std::optional<QString> _name;
    std::optional<QString> _directory;
    QString _behindTheLink; // all of it
    QTextCharFormat _attributes;
    std::int32_t _productId = 0;
    bool _shortVersion = false;
};
