// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/SectorWriter.h"

namespace quarner {

SectorWriter::~SectorWriter() = default;

} // namespace quarner
