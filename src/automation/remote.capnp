@0xf16668939b31e859;
# Calls between processes. One generic interface carries every by-name call over the member
# tables of the automation classes; object references travel as capabilities, so an object
# handed to another process stays where it was made and is called back there.

using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("automation::wire");

enum Kind {
  get @0;
  put @1;
  method @2;
}

# An object reference: the capability that calls it, and where it lives (the apartment that
# made it and its number there), so that a reference coming home becomes the object itself
# again instead of a proxy of a proxy; and the operating-system process of that apartment, which
# a caller watches while it waits for an answer.
struct ObjectRef {
  cap @0 :Dispatch;
  apartment @1 :UInt64;
  id @2 :UInt64;
  process @3 :UInt32;
}

# A Variant. Strings are bytes (UTF-8 inside the program, any byte allowed, NUL included).
struct Value {
  union {
    empty @0 :Void;
    boolean @1 :Bool;
    byte @2 :UInt8;
    integer @3 :Int16;
    long @4 :Int32;
    single @5 :Float32;
    double @6 :Float64;
    currency @7 :Int64;   # scaled by 10,000
    string @8 :Data;
    nothing @9 :Void;     # an object reference to no object
    object @10 :ObjectRef;
  }
}

# An argument slot that the call changed (a by-reference argument written back, or an optional
# argument filled in with its default).
struct Slot {
  index @0 :UInt32;
  value @1 :Value;
}

# An automation error with its six fields.
struct Fault {
  number @0 :Int32;
  source @1 :Data;
  description @2 :Data;
  helpFile @3 :Data;
  helpContext @4 :Int32;
  line @5 :Int32;
}

interface Dispatch {
  # Calls a member by name through one of the object's interfaces ("" = its default one).
  # Either the result or the fault is set; the written slots come back in both cases.
  invoke @0 (interface :Text, member :Text, kind :Kind, args :List(Value))
      -> (written :List(Slot), result :Value, fault :Fault);
}

# What a connection to a process's socket first receives: the object it serves there.
interface Root {
  root @0 () -> (object :ObjectRef);
}
