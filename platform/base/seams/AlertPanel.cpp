#include "platform/base/seams/AlertPanel.h"

#include <string_view>
#include <utility>

AlertPanel::Presenter& AlertPanel::_presenter()
{
    static Presenter presenter;
    return presenter;
}

void AlertPanel::setPresenter(Presenter presenter)
{
    _presenter() = std::move(presenter);
}

std::string AlertPanel::text(const Alert& alert)
{
    constexpr std::string_view mark = "%1";
    std::string text = alert.message;
    const auto at = text.find(mark);
    if (!alert.path.empty() && at != std::string::npos)
        text.replace(at, mark.size(), alert.path);
    return text;
}

int AlertPanel::runAlertPanel(const Alert& alert)
{
    return _presenter() ? _presenter()(alert) : int{answerDefault};
}
