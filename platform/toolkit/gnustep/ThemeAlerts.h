/// How alerts are laid out in the theme.
#pragma once

/// From now on for every alert. To be called once, when the application has started.
void UseThemeAlerts(void);
