// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/// Includes everything that a host's tests need of the scripted platform: see `ScriptedPlatform`.

#include "quarner/scripted/BurnScripts.h"
#include "quarner/scripted/ScriptedBurn.h"
#include "quarner/scripted/ScriptedDrive.h"
#include "quarner/scripted/ScriptedPlatform.h"
#include "quarner/scripted/ScriptedQueue.h"
#include "quarner/scripted/Scripts.h"
#include "quarner/scripted/ServiceCall.h"
