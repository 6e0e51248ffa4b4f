#include "platform/base/seams/AlertPanel.h"

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

int AlertPanel::runAlertPanel(const Alert& alert)
{
    return _presenter() ? _presenter()(alert) : int{answerDefault};
}
