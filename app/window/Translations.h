// The program's texts, and Qt's own, in the user's language as far as there are translations; the
// string table in English where there are none. Made after the QApplication and gone before it.
#pragma once

#include <QTranslator>

class Translations
{
public:
    Translations();
    Translations(const Translations&) = delete;
    Translations& operator=(const Translations&) = delete;
    ~Translations();

private:
    QTranslator _qt;
    QTranslator _english;
    QTranslator _own;
};
