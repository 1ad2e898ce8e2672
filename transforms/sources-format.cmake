list(APPEND TRANSFORM_SOURCES
    transformcase.cpp transformcase.h
    transformchop.cpp transformchop.h
    transformdateformat.cpp transformdateformat.h
    transformdecode.cpp transformdecode.h
    transformextract.cpp transformextract.h
    transformfilldown.cpp transformfilldown.h
    transforminsert.cpp transforminsert.h
    transformnumbase.cpp transformnumbase.h
    transformnumberformat.cpp transformnumberformat.h
    transformpad.cpp transformpad.h
    transformreplacemulti.cpp transformreplacemulti.h
    transformscale.cpp transformscale.h
    transformslide.cpp transformslide.h
    transformunfill.cpp transformunfill.h
    transformwhitespace.cpp transformwhitespace.h
)
