// Owns the headers that are read once; it has nothing to say itself.
