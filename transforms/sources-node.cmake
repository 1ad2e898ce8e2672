# The flow item that carries a transform.
list(APPEND TRANSFORM_SOURCES
    transformnode.cpp transformnode.h
)
