#pragma once

// ReferenceBalanceTest, which fails a test that leaves a host object alive or a reference
// unreleased, is shared with the host tests.
#include "../host/hosttesting.h"
