#pragma once

/// @file
/// The authoring kit: interfaces, references, creation, components, TIEs and extensions in few
/// lines. It stands on the exported headers alone, and mixes freely with what is written on them
/// by hand. C++17; with and without RTTI and exceptions, which change nothing of what is laid out.

#include "lyr/component.h"
#include "lyr/create.h"
#include "lyr/extension.h"
#include "lyr/failure.h"
#include "lyr/id.h"
#include "lyr/interface.h"
#include "lyr/options.h"
#include "lyr/ref.h"
#include "lyr/runtime.h"
#include "lyr/tie.h"
