#ifndef VYGIS_VYGISCORE_H
#define VYGIS_VYGISCORE_H

// The application core: number texts, theme icons and the wait dialog.

#include "vyapplication.h"
#include "vywaitdialog.h"

#endif // VYGIS_VYGISCORE_H
