# The helpers that the key-based merges share.
list(APPEND TRANSFORM_SOURCES
    keyguess.cpp keyguess.h
)
