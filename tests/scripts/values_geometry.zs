# 工具.坐标点: two integers, offset in place.
p = new 工具.坐标点
print p.横坐标, p.纵坐标
p.初始化(3, 4)
p.偏移(-5, 10)
print p.横坐标, p.纵坐标
p.横坐标 = 2147483647
p.偏移(1, 0)
print p.横坐标

# A point writes its two integers to a stream, x first, and reads them back.
p.初始化(7, -1)
s = new 工具.内存流
print p.序列化(s)
print s.取数据()
q = new 工具.坐标点
print q.反序列化(s)
print q.横坐标, q.纵坐标

# 工具.尺寸: empty unless both sides are positive.
z = new 工具.尺寸
print z.是否为空()
z.初始化(4, 0)
print z.是否为空()
z.扩大(1, 2)
print z.到文本()
print z.是否为空()
w = new 工具.尺寸
w.到对象(" 5 , 2 ")
print w.相等(z)
w.到对象("6")
print w.宽度, w.高度
print w.相等(z)

# 工具.矩形: left and top belong to it, right and bottom do not.
r = new 工具.矩形
print r.到文本(), r.是否为空()
r.初始化(0, 0, 10, 5)
print r.宽度, r.高度
print r.包含点(0, 0), r.包含点(9, 4), r.包含点(10, 0), r.包含点(0, 5)
p.初始化(9, 4)
print r.包含坐标点(p)
p.偏移(0, 1)
print r.包含坐标点(p)

# Reversed edges make an empty rectangle until normalised.
v = new 工具.矩形
v.初始化(10, 8, 0, 2)
print v.是否为空(), v.宽度, v.包含点(5, 5)
v.规格化()
print v.到文本(), v.包含点(5, 5)

# An empty rectangle leaves a union alone; an empty receiver takes the other.
e = new 工具.矩形
e.初始化(50, 50, 50, 60)
u = new 工具.矩形
u.初始化(0, 0, 2, 2)
u.合并(e)
print u.到文本()
far = new 工具.矩形
far.初始化(10, 10, 12, 13)
u.合并(far)
print u.到文本()
e.合并(far)
print e.到文本()

# Touching edges do not overlap; a disjoint intersection is 0, 0, 0, 0.
a = new 工具.矩形
a.初始化(0, 0, 10, 10)
b = new 工具.矩形
b.初始化(5, 5, 20, 20)
t = new 工具.矩形
t.初始化(10, 0, 20, 10)
print a.是否相交(b), a.是否相交(t)
a.求交集(b)
print a.到文本()
a.求交集(t)
print a.到文本(), a.是否为空()

# Containment of rectangles; empty ones are inside nothing.
print r.包含矩形(r)
t.初始化(2, 1, 10, 5)
print r.包含矩形(t)
t.右 = 11
print r.包含矩形(t)
t.置空()
print r.包含矩形(t)

# Placement, size, centre, equality, text.
r.置位置尺寸(-2, -3, 4, 6)
print r.到文本(), r.取中心横坐标(), r.取中心纵坐标()
r.偏移(1, 1)
r.移动到(100, 200)
print r.到文本()
r.扩大(1, -2)
print r.到文本()
r.宽度 = 10
r.高度 = 1
print r.左, r.上, r.右, r.下
c = new 工具.矩形
c.到对象(r.到文本())
print c.相等(r)
c.到对象("0 ,1")
print c.到文本(), c.相等(r)
