// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IParameterSet.h"
#include "parameters/zmtl/IParameter.h"

namespace orvane {

/// A parameter set that hears the changes of its own values, whatever their type.
class IParameterSetListener : public virtual IParameterSet,
                              public zmtl::IParameter<bool>::Listener,
                              public zmtl::IParameter<float>::Listener,
                              public zmtl::IParameter<VirtualAcoustics::Type>::Listener,
                              public zmtl::IParameter<IOutputFormat::Format>::Listener {};

} // namespace orvane
