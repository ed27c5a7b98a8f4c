print "one"
print "жпнд"
