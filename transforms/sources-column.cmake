# The column transforms, with Calculate and Javascript.
list(APPEND TRANSFORM_SOURCES
    transformcalculate.cpp transformcalculate.h
    transformcompare.cpp transformcompare.h
    transformconcat.cpp transformconcat.h
    transformcopy.cpp transformcopy.h
    transformgather.cpp transformgather.h
    transformif.cpp transformif.h
    transformjavascript.cpp transformjavascript.h
    transformmoving.cpp transformmoving.h
    transformnewcol.cpp transformnewcol.h
    transformoffset.cpp transformoffset.h
    transformpseudonym.cpp transformpseudonym.h
    transformremovecols.cpp transformremovecols.h
    transformrenamecols.cpp transformrenamecols.h
    transformreorder.cpp transformreorder.h
    transformreshape.cpp transformreshape.h
    transformspread.cpp transformspread.h
    transformsplit.cpp transformsplit.h
    transformsplitname.cpp transformsplitname.h
)
