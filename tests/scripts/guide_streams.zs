# Recipe: save values and objects to bytes and load them back. The bytes carry
# no tags: read in the order you wrote.
out = new 工具.内存输出流
p = new 工具.坐标点
p.初始化(3, -4)
print out.写整数(2), out.写文本("ab"), p.序列化(out), out.写小数(0.5)
bytes = out.取数据()
print out.取长度(), bytes
in = new 工具.内存输入流
in.初始化数据(bytes)
q = new 工具.坐标点
print in.读整数(), in.读文本(), q.反序列化(in), in.读小数()
print q.横坐标, q.纵坐标
# Past the end the reads give sentinels.
print in.读整数(), in.读文本()
# A byte set goes last: reading one advances by its count only.
s = new 工具.内存流
s.写字节集(x"0102")
print s.读字节集()
