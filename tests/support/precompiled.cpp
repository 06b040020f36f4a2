/* Nothing of its own: the target that holds the tests' precompiled headers needs a source. */
