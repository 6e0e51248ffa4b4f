// The user's settings: values under keys, kept in one INI file, with registered fallbacks for keys
// the user never set. Every change is in the file when the call returns, and keys that another
// process changed meanwhile are kept. A file that cannot be written or understood does no harm:
// what is set holds for this process.
//
// Values are texts, numbers, booleans, byte arrays and lists of texts. The file knows numbers and
// booleans as texts alone, also within lists: they are asked for by the function of their type.
//
// Any thread may call anything: one mutex guards the values, and didChange is emitted after it is
// unlocked, on the thread that made the change.
#pragma once

#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <filesystem>
#include <memory>
#include <optional>

class QSettings;

class UserDefaults : public QObject
{
    Q_OBJECT

public:
    // The file is made with the first value set.
    explicit UserDefaults(std::filesystem::path file);
    ~UserDefaults() override;

    // The file parcelo/parcelo.conf in the user's configuration folder.
    static UserDefaults& standardUserDefaults();

    // For tests. Not while another thread uses the former ones, whose bindings are gone with them.
    static void setStandardUserDefaults(std::unique_ptr<UserDefaults> defaults);

    // Adds to the fallbacks, which are never written.
    void registerDefaults(const QVariantMap& fallbacks);

    // Invalid where there is neither value nor fallback.
    [[nodiscard]] QVariant objectForKey(const QString& key) const;

    // Numbers and booleans as text, "true" or "false"; nothing for other kinds.
    [[nodiscard]] std::optional<QString> stringForKey(const QString& key) const;

    // Texts as TextNumber reads them; false and 0 where there is none.
    [[nodiscard]] bool boolForKey(const QString& key) const;
    [[nodiscard]] qint64 integerForKey(const QString& key) const;

    // Nothing where there is no list; for strings, also when an element is something else.
    [[nodiscard]] std::optional<QVariantList> arrayForKey(const QString& key) const;
    [[nodiscard]] std::optional<QStringList> stringArrayForKey(const QString& key) const;

    // An invalid value removes the key.
    void setObject(const QVariant& object, const QString& forKey);
    void setBool(bool value, const QString& forKey);
    void setInteger(qint64 value, const QString& forKey);

    // The same for several keys, with one write of the file.
    void setObjects(const QVariantMap& objects);

    // Takes over what other processes have written, and tries again what could not be written.
    void synchronize();

Q_SIGNALS:
    // What is read under the key is something else now.
    void didChange(const QString& key);

private:
    QVariantMap _read() const;
    void _write();
    template <typename Change> void _change(Change change);

    const std::filesystem::path _path;
    mutable QMutex _mutex; // guards what follows
    std::unique_ptr<QSettings> _file;
    QVariantMap _fallbacks;
    QVariantMap _objects; // what is read under each key
};
