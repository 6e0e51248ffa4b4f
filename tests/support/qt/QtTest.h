// The same for tests that take a QApplication.
#pragma once

#include "tests/support/Test.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>
