// The manual that comes with the program, a page for each language. F1 opens it in the browser,
// from whatever window of ours has the keys; without a browser it has a plain window here. Main
// thread.
#pragma once

#include <QObject>

#include <filesystem>
#include <memory>
#include <optional>

class QDialog;

class Manual : public QObject
{
public:
    Manual();
    ~Manual() override;

    // The page in the user's language, or else in English; nothing when the program has none.
    [[nodiscard]] static std::optional<std::filesystem::path> page();

    void show();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void _showInWindow(const std::filesystem::path& page);

    std::unique_ptr<QDialog> _window; // once it is shown
};
