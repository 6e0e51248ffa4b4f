// The one object of a class that the whole process shares: the desktop's own, which is made on
// first use, lives on the main thread and is kept until the process ends, or what a test puts in
// its place. Any thread.
#pragma once

#include <QCoreApplication>

#include <atomic>

template <typename Service> class SharedService
{
public:
    static Service& get()
    {
        static Service* const desktop = [] {
            auto* service = new Service;
            service->moveToThread(QCoreApplication::instance()->thread());
            return service;
        }();
        Service* const standIn = _standIn;
        return standIn ? *standIn : *desktop;
    }

    // Borrowed; null: the desktop's own again.
    static void set(Service* standIn) { _standIn = standIn; }

private:
    inline static std::atomic<Service*> _standIn = nullptr;
};
