# The first error ends the run: no cascade of errors about s on later lines.
print "before"
s = new 工具.文本内
s.文本 = "ab"
print s.取长度()
