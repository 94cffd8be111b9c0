mirellon_add_test(base/text LINK mirellon_base)
mirellon_add_test(base/checked_file LINK mirellon_base)
mirellon_add_test(base/child_process LINK mirellon_base)
mirellon_add_test(base/ini_file LINK mirellon_base)
