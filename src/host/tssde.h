#ifndef VYGIS_TSSDE_H
#define VYGIS_TSSDE_H

// Spatial data access: fields, filters, layers, tables and rasters.

#include "tsfeaturelayer.h"
#include "tsfield.h"
#include "tslayer.h"
#include "tsqueryfilter.h"
#include "tsraster.h"
#include "tstable.h"

#endif // VYGIS_TSSDE_H
