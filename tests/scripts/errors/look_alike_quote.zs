print “ab”
