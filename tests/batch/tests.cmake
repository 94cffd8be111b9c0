mirellon_add_test(batch/folder_walk LINK mirellon_batch)
mirellon_add_test(batch/batch_run LINK mirellon_batch mirellon_test_image_files PkgConfig::exiv2)
mirellon_add_test(batch/time_estimate LINK mirellon_batch)
