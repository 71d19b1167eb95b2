#include "automation/marshal.h"

#include <string>

#include "automation/remote_object.h"

namespace automation {
namespace {

kj::ArrayPtr<const kj::byte> Bytes(const std::string& text) {
  return kj::arrayPtr(reinterpret_cast<const kj::byte*>(text.data()), text.size());
}

std::string Text(capnp::Data::Reader data) {
  return std::string(reinterpret_cast<const char*>(data.begin()), data.size());
}

}  // namespace

void ToWire(const Variant& value, wire::Value::Builder out) {
  switch (value.Type()) {
    case VarType::Empty:
    case VarType::Variant:
      out.setEmpty();
      return;
    case VarType::Boolean:
      out.setBoolean(value.ToBool());
      return;
    case VarType::Byte:
      out.setByte(value.ToByte());
      return;
    case VarType::Integer:
      out.setInteger(value.ToInteger());
      return;
    case VarType::Long:
      out.setLong(value.ToLong());
      return;
    case VarType::Single:
      out.setSingle(value.ToSingle());
      return;
    case VarType::Double:
      out.setDouble(value.ToDouble());
      return;
    case VarType::Currency:
      out.setCurrency(value.ToCurrency().scaled);
      return;
    case VarType::String:
      out.setString(Bytes(value.ToString()));
      return;
    case VarType::Object:
      if (ObjectRef object = value.ToObject()) {
        ExportObject(object, out.initObject());
      } else {
        out.setNothing();
      }
      return;
  }
  Raise(err::kTypeMismatch, "a value of type " + std::string(VarTypeName(value.Type())) +
                                " cannot be passed to another process");
}

Variant FromWire(wire::Value::Reader in) {
  switch (in.which()) {
    case wire::Value::EMPTY:
      return Variant();
    case wire::Value::BOOLEAN:
      return Variant(in.getBoolean());
    case wire::Value::BYTE:
      return Variant::Byte(in.getByte());
    case wire::Value::INTEGER:
      return Variant::Integer(in.getInteger());
    case wire::Value::LONG:
      return Variant::Long(in.getLong());
    case wire::Value::SINGLE:
      return Variant::Single(in.getSingle());
    case wire::Value::DOUBLE:
      return Variant(in.getDouble());
    case wire::Value::CURRENCY:
      return Variant::Cur(Currency{in.getCurrency()});
    case wire::Value::STRING:
      return Variant(Text(in.getString()));
    case wire::Value::NOTHING:
      return Variant(ObjectRef());
    case wire::Value::OBJECT:
      return Variant(ImportObject(in.getObject()));
  }
  // A value kind from a newer peer that this build does not know.
  Raise(err::kTypeMismatch, "a value from another process has an unknown type");
}

void ToWire(const Error& error, wire::Fault::Builder out) {
  out.setNumber(error.Number());
  out.setSource(Bytes(error.Source()));
  out.setDescription(Bytes(error.Description()));
  out.setHelpFile(Bytes(error.HelpFile()));
  out.setHelpContext(error.HelpContext());
  out.setLine(error.Line());
}

Error FromWire(wire::Fault::Reader in) {
  return Error(in.getNumber(), Text(in.getSource()), Text(in.getDescription()),
               Text(in.getHelpFile()), in.getHelpContext(), in.getLine());
}

}  // namespace automation
