#include "platform/desktop/services/ProgramLauncher.h"

#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <utility>

namespace
{

// Watches one program for its first seconds and goes then.
class LaunchWatch : public QObject
{
public:
    LaunchWatch(const DetachedProcess::Setup& setup, QObject* context,
        std::function<void(bool)> then, std::chrono::milliseconds watched)
        : QObject(context)
        , _then(std::move(then))
    {
        try {
            _process = std::make_unique<DetachedProcess>(setup);
        } catch (const LaunchFailure&) {
            watched = {}; // what cannot be started is told in the same way
        }
        if (_process && _process->exitDescriptor() >= 0) {
            auto* notifier
                = new QSocketNotifier(_process->exitDescriptor(), QSocketNotifier::Read, this);
            connect(notifier, &QSocketNotifier::activated, this, [this] { _finish(); });
        }
        connect(&_timer, &QTimer::timeout, this, [this] { _finish(); });
        _timer.setSingleShot(true);
        _timer.start(watched);
    }

private:
    void _finish()
    {
        if (!_then)
            return;
        const bool works = _process && _process->exitStatus().value_or(0) == 0;
        deleteLater();
        std::exchange(_then, nullptr)(works);
    }

    std::unique_ptr<DetachedProcess> _process;
    QTimer _timer;
    std::function<void(bool)> _then;
};

} // namespace

void ProgramLauncher::launch(const DetachedProcess::Setup& setup, QObject* context,
    std::function<void(bool works)> then, std::chrono::milliseconds watched)
{
    new LaunchWatch(setup, context, std::move(then), watched);
}
