# Recipe: read and write the bytes of a byte set through an address and a
# pointer. The pointer trusts you: stay inside the value.
buf = x"0000000000000000"
a = new 工具.地址
a.置为字节集地址(buf)
p = new 工具.指针
p.指向(a)
p.步长 = 4
p.整数 = 258
p.前进()
p.整数 = -1
print buf
p.后退()
print p.短整数, p.字节
# The address of an empty byte set is null: nothing to point at.
e = new 工具.地址
e.置为字节集地址(x"")
print e.是否为空()
