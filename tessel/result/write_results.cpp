// The implementation follows.
