mirellon_add_test(base/text LINK mirellon_base)
