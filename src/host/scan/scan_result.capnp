@0xf8dea1b667584012;
# What a scan hands back, as it crosses from the IDE's process to qx's (scan_result.h). Texts are
# Data: the bytes are carried as the IDE gives them.

struct ScanErrorMessage {
  number @0 :Int32;
  description @1 :Data;
  place @2 :Data;
}

struct ScanMatchMessage {
  line @0 :UInt64;
  start @1 :UInt64;
  end @2 :UInt64;
  text @3 :Data;
  replacement @4 :Data;  # left out when the scan replaces nothing
}

struct ScanPlaceMessage {
  id @0 :Data;
  kind @1 :Data;
  name @2 :Data;
  control @3 :Data;
  property @4 :Data;
  text @5 :Data;
  matches @6 :List(ScanMatchMessage);
  replacement @7 :Data;  # left out when the scan replaces nothing
  written @8 :Bool;
  resets @9 :Data;
  error @10 :ScanErrorMessage;  # left out when the place had none
}

struct ComponentScanMessage {
  collection @0 :Data;
  component @1 :Data;
  places @2 :List(ScanPlaceMessage);
  problems @3 :List(ScanErrorMessage);
}

# What the scan agent did with one component of a batch.
struct AgentOutcomeMessage {
  union {
    scans @0 :Data;  # the component's scan results, as a scan buffer holds them
    factoryError @1 :ScanErrorMessage;  # making the component object failed
    scanError @2 :ScanErrorMessage;     # its scan failed
  }
}
