// Runs the blocks of the main queue by the application's event loop. Made after the QApplication,
// on its thread, and gone before it; blocks that are due later are dropped then.
#pragma once

class MainQueueTimers
{
public:
    MainQueueTimers();
    MainQueueTimers(const MainQueueTimers&) = delete;
    MainQueueTimers& operator=(const MainQueueTimers&) = delete;
    ~MainQueueTimers();
};
