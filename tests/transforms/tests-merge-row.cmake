tabrelle_add_test(tst_merge-rowoptions SOURCES tst_merge-rowoptions.cpp LIBS tabrelle_transforms)
