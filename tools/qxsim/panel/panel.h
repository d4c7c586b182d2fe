// The panel: one page that shows and sets the instrument's state and shows the decoded traffic. It uses the API only
// and needs nothing from anywhere else.
#ifndef QXSIM_PANEL_PANEL_H
#define QXSIM_PANEL_PANEL_H

#include <string_view>

namespace qxsim {

/// The page as UTF-8 HTML; panel.html, put into the program when it is built.
std::string_view PanelPage();

}  // namespace qxsim

#endif
