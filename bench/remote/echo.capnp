@0xa8ffe4c58f769e68;
# The bare round trip that a cross-process automation call is measured against.

interface Echo {
  echo @0 (value :Int32) -> (value :Int32);
}
