# Merge and row transforms, and the helper that orders the inputs of the merges.
list(APPEND TRANSFORM_SOURCES
    inputorder.cpp inputorder.h
    transformconcatrows.cpp transformconcatrows.h
    transformcross.cpp transformcross.h
    transformdedupe.cpp transformdedupe.h
    transformfilter.cpp transformfilter.h
    transformheader.cpp transformheader.h
    transforminterpolate.cpp transforminterpolate.h
    transformintersect.cpp transformintersect.h
    transformjoin.cpp transformjoin.h
    transformlookup.cpp transformlookup.h
    transformnewrows.cpp transformnewrows.h
    transformrownum.cpp transformrownum.h
    transformsample.cpp transformsample.h
    transformsequence.cpp transformsequence.h
    transformslice.cpp transformslice.h
    transformsort.cpp transformsort.h
    transformsplitrows.cpp transformsplitrows.h
    transformstack.cpp transformstack.h
    transformsubtract.cpp transformsubtract.h
    transformunique.cpp transformunique.h
)
