#pragma once
// Variants and errors in and out of RPC messages. Every type a Variant holds crosses unchanged
// (an Integer stays an Integer, a Single a Single); object references become capabilities.

#include "automation/error.h"
#include "automation/remote.capnp.h"
#include "automation/variant.h"

namespace automation {

void ToWire(const Variant& value, wire::Value::Builder out);
Variant FromWire(wire::Value::Reader in);

void ToWire(const Error& error, wire::Fault::Builder out);
Error FromWire(wire::Fault::Reader in);

}  // namespace automation
