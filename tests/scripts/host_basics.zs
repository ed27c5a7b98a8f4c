# The script language itself, on the host's own classes only (系统.*).
# Literals print as documented in docs/runtime-abi.md.
print 42, -7, 0
print 2.5, -0.125, 0.1, 1e21, 3.0
print 真, 假, null
print "plain", "tab\tand\nnewline", "quote\" backslash\\"
print x"", x"00ff7f"

# Variables hold values; reassigning drops the old one.
a = "first"
b = a   # a trailing comment
a = "second"
print a, b
expect a != b
expect b == "first"
expect 3 > 2
expect 2.5 <= 2.5
expect -1 < 0
expect x"0102" < x"0103"
expect 1 == 1.0
expect 真 == 1
expect 真

# Objects: the root class has no members.
o = new 系统.对象
p = o
expect o == p
q = new 系统.对象
expect o != q
print o, q
o = null
expect o == null
print p
