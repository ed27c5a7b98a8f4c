# The literal below holds e-acute in Latin-1, not UTF-8.
print "café"
