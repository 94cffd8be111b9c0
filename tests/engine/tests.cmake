mirellon_add_test(engine/similarity_kernel LINK mirellon_engine SOURCES engine/reference_kernel.cpp)
mirellon_add_test(engine/noise_estimate LINK mirellon_engine)
mirellon_add_test(engine/point_artefacts LINK mirellon_engine PkgConfig::hwy)
mirellon_add_test(engine/pyramid_plane LINK mirellon_engine)
